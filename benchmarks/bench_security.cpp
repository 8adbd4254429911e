// The keystream and the Base64 encoder beside those of OpenSSL. Both ciphers set up their key in
// every call.

#include <benchmark/benchmark.h>
#include <openssl/blowfish.h>
#include <openssl/evp.h>
#include <pylon/security/credentials.h>
#include <pylon/security/cryptotools.h>

#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

constexpr unsigned char key[16] = {7, 1, 4, 9, 2, 8, 3, 6, 5, 0, 11, 15, 10, 14, 13, 12};

void keystream(Bytes& data) {
    unsigned char iv[8] = {1};
    pylon::CryptoTools::blowfishECB(data.data(), static_cast<unsigned>(data.size()), key, iv);
}

void keystreamPeer(Bytes& data) {
    unsigned char iv[8] = {1};
    int position = 0;
    BF_KEY schedule;
    BF_set_key(&schedule, sizeof key, key);
    BF_ofb64_encrypt(data.data(), data.data(), static_cast<long>(data.size()), &schedule, iv,
                     &position);
}

void encode(const Bytes& data, std::vector<char>& text) {
    pylon::base64(data.data(), static_cast<int>(data.size()), text.data());
}

void encodePeer(const Bytes& data, std::vector<char>& text) {
    EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), data.data(),
                    static_cast<int>(data.size()));
}

void registerKeystream(const std::string& name, std::size_t size, void (*cipher)(Bytes&)) {
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        Bytes data(size, 'x');
        for (auto _ : state) {
            cipher(data);
            benchmark::ClobberMemory();
        }
        state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size));
    });
}

void registerEncoder(const std::string& name, std::size_t size,
                     void (*encoder)(const Bytes&, std::vector<char>&)) {
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        Bytes data(size);
        for (std::size_t i = 0; i < size; ++i)
            data[i] = static_cast<unsigned char>(i * 37 + i / 256);
        std::vector<char> text(size / 3 * 4 + 5);
        for (auto _ : state) {
            encoder(data, text);
            benchmark::ClobberMemory();
        }
        state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size));
    });
}

}  // namespace

int main(int argc, char** argv) {
    // Names as in ratios.py; 6 bytes are a salt, 18 those of a digest that are shown.
    for (const auto& [name, size] :
         {std::pair("1KiB", 1024), {"64KiB", 64 * 1024}, {"1MiB", 1024 * 1024}}) {
        const auto bytes = static_cast<std::size_t>(size);
        registerKeystream(std::string("Keystream") + name + "/BlowfishECB", bytes, keystream);
        registerKeystream(std::string("Keystream") + name + "/Peer_BfOfb64", bytes, keystreamPeer);
    }
    for (const auto& [name, size] :
         {std::pair("6B", 6), {"18B", 18}, {"1KiB", 1024}, {"1MiB", 1024 * 1024}}) {
        const auto bytes = static_cast<std::size_t>(size);
        registerEncoder(std::string("Base64Of") + name + "/Base64", bytes, encode);
        registerEncoder(std::string("Base64Of") + name + "/Peer_EvpEncodeBlock", bytes, encodePeer);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
