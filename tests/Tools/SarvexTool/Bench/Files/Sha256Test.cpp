#include "Tools/SarvexTool/Bench/Files/Sha256.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {
namespace {

std::string HashOf(std::string_view bytes, std::size_t pieceSize) {
    Sha256 hash;
    for (; !bytes.empty(); bytes.remove_prefix(std::min(pieceSize, bytes.size())))
        hash.Add(bytes.substr(0, pieceSize));
    return hash.Finish();
}

struct Case {
    std::string bytes;
    std::string hash;
};

TEST(Sha256Test, IsThatOfThePublishedVectors) {
    for (const Case& each : std::vector<Case>{
             {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
             {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
             {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
             {"abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmn"
              "opqrlmnopqrsmnopqrstnopqrstu",
              "cf5b16a778af8380036ce59e7b0492370b249b11e8f07a51afac45037afee9d1"},
             {std::string(1'000'000, 'a'),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
             {"\xBD", "68325720aabd7c82f30f554b313d0570c95accbb7dc4b5aae11204c08ffe732b"}}) {
        SCOPED_TRACE(each.hash);
        for (const std::size_t pieceSize : {std::size_t{1}, std::size_t{63}, std::size_t{65536}})
            EXPECT_EQ(HashOf(each.bytes, pieceSize), each.hash);
    }
}

TEST(Sha256Test, IsRightAroundTheEndOfABlock) {
    // Of NUL bytes, as the standard's authors give them for these sizes.
    EXPECT_EQ(HashOf(std::string(55, '\0'), 7),
              "02779466cdec163811d078815c633f21901413081449002f24aa3e80f0b88ef7");
    EXPECT_EQ(HashOf(std::string(56, '\0'), 7),
              "d4817aa5497628e7c77e6b606107042bbba3130888c5f47a375e6179be789fbb");
    EXPECT_EQ(HashOf(std::string(57, '\0'), 7),
              "65a16cb7861335d5ace3c60718b5052e44660726da4cd13bb745381b235a1785");
    EXPECT_EQ(HashOf(std::string(64, '\0'), 7),
              "f5a5fd42d16a20302798ef6ed309979b43003d2320d9f0e8ea9831a92759fb4b");
}

} // namespace
} // namespace Bench
