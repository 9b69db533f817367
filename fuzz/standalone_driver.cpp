// Runs a fuzz target without libFuzzer: each seed as it is, then damaged seeds until the time is
// up.
//   TARGET SECONDS [FILE OR FOLDER]...
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t LARGEST_INPUT = 64 * 1024;

void read_seed(const fs::path& file, std::vector<Bytes>& seeds) {
    std::ifstream input(file, std::ios::binary);
    seeds.emplace_back(std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>());
}

std::vector<Bytes> read_seeds(int count, char** names) {
    std::vector<Bytes> seeds = {{}};
    for (int i = 0; i < count; ++i) {
        if (fs::is_regular_file(names[i])) read_seed(names[i], seeds);
        if (!fs::is_directory(names[i])) continue;
        for (const auto& entry : fs::recursive_directory_iterator(names[i])) {
            if (entry.is_regular_file()) read_seed(entry.path(), seeds);
        }
    }
    return seeds;
}

class Mutator {
  public:
    Mutator(std::vector<Bytes> seeds, std::uint32_t number)
        : seeds_(std::move(seeds)), random_(number) {}

    // One of the seeds with some bytes changed, inserted, removed or taken from another seed.
    Bytes next() {
        Bytes input = pick();
        for (std::size_t changes = 1 + below(8); changes > 0; --changes) change(input);
        if (input.size() > LARGEST_INPUT) input.resize(LARGEST_INPUT);
        return input;
    }

  private:
    std::size_t below(std::size_t bound) { return bound == 0 ? 0 : random_() % bound; }
    const Bytes& pick() { return seeds_[below(seeds_.size())]; }
    auto place(Bytes& input) {
        return input.begin() + static_cast<std::ptrdiff_t>(below(input.size() + 1));
    }

    void change(Bytes& input) {
        switch (below(4)) {
            case 0:
                if (!input.empty()) {
                    input[below(input.size())] = static_cast<std::uint8_t>(random_());
                }
                break;
            case 1: {
                const Bytes added(1 + below(16), static_cast<std::uint8_t>(random_()));
                input.insert(place(input), added.begin(), added.end());
                break;
            }
            case 2: {
                const auto from = place(input);
                const auto left = static_cast<std::size_t>(input.end() - from);
                input.erase(from, from + static_cast<std::ptrdiff_t>(below(left + 1)));
                break;
            }
            default: {
                const Bytes other = pick();
                const std::size_t from = below(other.size());
                const std::size_t count = below(other.size() - from + 1);
                const auto begin = other.begin() + static_cast<std::ptrdiff_t>(from);
                input.insert(place(input), begin, begin + static_cast<std::ptrdiff_t>(count));
            }
        }
    }

    std::vector<Bytes> seeds_;
    std::mt19937 random_;
};

std::uint32_t seed_number() {
    const char* wanted = std::getenv("SXML_TEST_SEED");
    return wanted != nullptr ? static_cast<std::uint32_t>(std::strtoul(wanted, nullptr, 10))
                             : std::random_device{}();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: " << argv[0] << " SECONDS [FILE OR FOLDER]...\n";
        return 2;
    }
    const std::vector<Bytes> seeds = read_seeds(argc - 2, argv + 2);
    for (const Bytes& seed : seeds) LLVMFuzzerTestOneInput(seed.data(), seed.size());
    const std::uint32_t number = seed_number();
    std::cout << "SXML_TEST_SEED=" << number << std::endl;
    Mutator mutator(seeds, number);
    std::uint64_t runs = seeds.size();
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(std::atoi(argv[1]));
    for (; std::chrono::steady_clock::now() < end; ++runs) {
        const Bytes input = mutator.next();
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
    std::cout << runs << " runs\n";
}
