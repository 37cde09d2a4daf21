// Table-driven checks of the pure rules: each row holds a rule's input and the
// result expected from it, so that a test is its table.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <tuple>
#include <utility>

namespace zorvi::testing {

// Walks the rows in order; a tuple input is spread over the rule's parameters.
// A failure names the row's number and its input.
template <typename In, typename Out, typename Rule>
void ExpectRows(const Rule& rule, std::initializer_list<std::pair<In, Out>> rows) {
    int number = 0;
    for (const auto& [input, expected] : rows) {
        SCOPED_TRACE(::testing::Message() << "row " << number++ << ": "
                                          << ::testing::PrintToString(input));
        if constexpr (requires { std::tuple_size<In>::value; }) {
            EXPECT_EQ(std::apply(rule, input), expected);
        } else {
            EXPECT_EQ(rule(input), expected);
        }
    }
}

}  // namespace zorvi::testing
