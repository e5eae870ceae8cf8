#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include "Bit.h"

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    try {
        return TARN_WORKLOAD_MAIN(arguments, std::cout, std::cerr);
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << "\n";
        return 1;
    }
}
