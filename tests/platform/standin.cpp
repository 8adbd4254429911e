// Prints what another program printed once: <own name>.txt of the folder that the variable
// PYLON_STANDIN names, as soon as no file "hold" lies beside it; until then, <own name>.up does.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <thread>

int main(int, char** argv) {
    namespace fs = std::filesystem;
    const fs::path folder = std::getenv("PYLON_STANDIN");
    const fs::path name = fs::path(argv[0]).stem();
    while (fs::exists(folder / "hold")) {
        std::fclose(std::fopen((folder / name).string().append(".up").c_str(), "w"));
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    // Text on both sides: a system that ends lines in its own way does so twice, to the same end.
    if (FILE* file = std::fopen((folder / name).string().append(".txt").c_str(), "r")) {
        for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file))
            std::putchar(c);
        std::fclose(file);
    }
}
