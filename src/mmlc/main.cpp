// mmlc: the example MML compiler that comes with Zorvi.
#include <iostream>
#include <string>
#include <vector>

#include "mmlc/mmlc_main.h"

int main(int argc, char** argv) {
    std::vector<std::string> args;
    for (int i = 1; i < argc; ++i) args.emplace_back(argv[i]);
    return mmlc::MmlcMain(args, std::cout, std::cerr);
}
