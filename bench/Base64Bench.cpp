#include "bench/Ratios.h"
#include "bench/TableDecoders.h"
#include "notify/feed/Base64.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <openssl/evp.h>
#include <random>
#include <string>
#include <vector>

namespace
{

constexpr std::size_t inputLength = 64 * 1024;

const std::string &cleanInput()
{
    static const std::string input = [] {
        constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        std::mt19937 random(1);
        std::string text(inputLength, ' ');
        for (char &c : text) {
            c = alphabet[random() % 64];
        }
        return text;
    }();
    return input;
}

/// The same in lines of 76 characters, as mail programs write it.
const std::string &inputInLines()
{
    static const std::string input = [] {
        std::string text = cleanInput();
        for (std::size_t place = 76; place < text.size(); place += 77) {
            text.insert(place, 1, '\n');
        }
        return text;
    }();
    return input;
}

/// Decodes again and again; `decode` returns the decoded size, which must be right.
template <typename Decode>
void measure(benchmark::State &state, const std::string &input, const Decode &decode)
{
    std::vector<unsigned char> output(inputLength + 4);
    for (auto _ : state) {
        if (decode(input, output.data()) != inputLength / 4 * 3) {
            state.SkipWithError("decodes wrongly");
            break;
        }
        benchmark::DoNotOptimize(output.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(input.size()));
}

std::size_t decodeOurs(const std::string &input, unsigned char *output)
{
    auto length = static_cast<int>(inputLength);
    xtl::base64_impl<int>::decode(input.data(), static_cast<int>(input.size()), output, &length);
    return static_cast<std::size_t>(length);
}

void ours(benchmark::State &state)
{
    measure(state, cleanInput(), decodeOurs);
}

void oursInLines(benchmark::State &state)
{
    measure(state, inputInLines(), decodeOurs);
}

void tablesByCharacters(benchmark::State &state)
{
    measure(state, cleanInput(), [](const std::string &input, unsigned char *output) {
        return decodeByCharacters(input.data(), input.size(), output);
    });
}

void tableByPairs(benchmark::State &state)
{
    measure(state, cleanInput(), [](const std::string &input, unsigned char *output) {
        return decodeByPairs(input.data(), input.size(), output);
    });
}

void openSsl(benchmark::State &state)
{
    measure(state, cleanInput(), [](const std::string &input, unsigned char *output) {
        return static_cast<std::size_t>(EVP_DecodeBlock(output, reinterpret_cast<const unsigned char *>(input.data()),
                                                        static_cast<int>(input.size())));
    });
}

void copy(benchmark::State &state)
{
    measure(state, cleanInput(), [](const std::string &input, unsigned char *output) {
        std::memcpy(output, input.data(), input.size());
        return inputLength / 4 * 3;
    });
}

BENCHMARK(ours);
BENCHMARK(oursInLines);
BENCHMARK(tablesByCharacters);
BENCHMARK(tableByPairs);
BENCHMARK(openSsl);
BENCHMARK(copy);

} // namespace

int main(int argc, char **argv)
{
    // Whichever of the other decoders is the best one.
    constexpr double maxMedian = 3;
    const Ratio ratios[] = {{"ours", "tablesByCharacters", maxMedian},
                            {"ours", "tableByPairs", maxMedian},
                            {"ours", "openSsl", maxMedian},
                            {"ours", "copy"},
                            {"oursInLines", "ours"}};
    return runAndCompare(argc, argv, ratios);
}
