// Prints what another program printed once: the file that the variable of its own name names, as
// soon as there is no file that PYLON_STANDIN_HOLD names. As ipconfig it wants to be asked for
// everything.

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <thread>

int main(int argc, char** argv) {
    const std::string name = std::filesystem::path(argv[0]).stem().string();
    if (name == "ipconfig" && (argc < 2 || argv[1] != std::string("/all")))
        return 1;
    const char* const hold = std::getenv("PYLON_STANDIN_HOLD");
    while (hold && std::filesystem::exists(hold))
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    // Text on both sides: a system that ends lines in its own way does so twice, to the same end.
    std::cout << std::ifstream(std::getenv(name.c_str())).rdbuf();
}
