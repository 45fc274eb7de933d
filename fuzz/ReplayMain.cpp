// Replays a fuzz target's saved inputs without libFuzzer: every file of the
// folders given goes through LLVMFuzzerTestOneInput once, so the corpus and
// the past findings run as a plain test with any compiler. A target fails by
// aborting; the last file named is the one that did it.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);

int main(int argc, char** argv)
{
    if (LLVMFuzzerInitialize != nullptr)
        LLVMFuzzerInitialize(&argc, &argv);
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i) {
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(argv[i], error))
            if (entry.is_regular_file())
                files.push_back(entry.path());
    }
    // Without inputs the test would pass having checked nothing.
    if (files.empty()) {
        std::fprintf(stderr, "no inputs in the folders given\n");
        return 1;
    }
    std::sort(files.begin(), files.end());
    for (const auto& path : files) {
        std::ifstream in(path, std::ios::binary);
        const std::vector<char> bytes { std::istreambuf_iterator<char>(in),
            std::istreambuf_iterator<char>() };
        if (!in.good() && !in.eof()) {
            std::fprintf(stderr, "%s does not read\n", path.c_str());
            return 1;
        }
        std::printf("%s (%zu bytes)\n", path.c_str(), bytes.size());
        std::fflush(stdout);
        // An empty vector's data() may be null; the targets take any pointer
        // with size 0, as libFuzzer passes them.
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("%zu inputs passed\n", files.size());
    return 0;
}
