// Which configuration is the active one when Setting/Default names none.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "settings/preset.h"
#include "support/rows.h"

namespace zorvi {
namespace {

using testing::ExpectRows;
using S = std::string;
using Names = std::set<S>;

TEST(Preset, ExampleStandsInForAMissingDefault) {
    ExpectRows<std::tuple<S, Names>, S>([](const S& stored, const Names& existing) {
        return ActivePresetName(stored, [&](const S& name) { return existing.contains(name); });
    }, {
        {{"", {"Example", "mine"}}, "Example"},       // a first start
        {{"gone", {"Example"}}, "Example"},           // the chosen file was deleted
        {{"mine", {"Example", "mine"}}, "mine"},      // a choice is kept
        {{"Example", {"Example"}}, "Example"},
        {{"", {"mine"}}, ""},                         // no example: as stored
        {{"gone", {}}, "gone"},                       // ... so the compile names it
    });
}

}  // namespace
}  // namespace zorvi
