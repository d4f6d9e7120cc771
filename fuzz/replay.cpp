// Main program of every fuzz target in builds without libFuzzer: runs each file of the given
// corpus folders through the target. A folder without a file is an error.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void replay(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    const std::string input{std::istreambuf_iterator<char>(stream), {}};
    std::cout << file.filename().string() << ": " << input.size() << " bytes\n" << std::flush;
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

bool replayFolder(const char* folder)
{
    bool found = false;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        replay(entry.path());
        found = true;
    }
    return found;
}

} // namespace

int main(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        if (!replayFolder(argv[i])) {
            std::cerr << argv[i] << ": no input\n";
            return EXIT_FAILURE;
        }
    }
    return argc > 1 ? EXIT_SUCCESS : EXIT_FAILURE;
}
