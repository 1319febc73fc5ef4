// Runs a fuzz target's inputs once each, without libFuzzer: for compilers
// that lack it, for coverage builds, and for stored findings.
//   replay_<target> FILE_OR_FOLDER...
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void replay(const std::filesystem::path& path, long& count) {
  std::ifstream in(path, std::ios::binary);
  const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  ++count;
}

}  // namespace

int main(int argc, char** argv) {
  long count = 0;
  for (int a = 1; a < argc; ++a) {
    const std::filesystem::path path(argv[a]);
    if (std::filesystem::is_directory(path)) {
      for (const auto& entry : std::filesystem::directory_iterator(path))
        if (entry.is_regular_file()) replay(entry.path(), count);
    } else {
      replay(path, count);
    }
  }
  std::printf("%ld inputs replayed\n", count);
  return 0;
}
