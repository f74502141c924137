#include "backup/KeyDerivation.h"

#include "core/records/Cancellation.h"

#include <algorithm>
#include <memory>

#include <openssl/evp.h>

namespace quillbook {
namespace {

constexpr std::size_t hashBlockSize = 64; // Of SHA-1 and SHA-256 alike.
constexpr std::size_t greatestTag = 32;
// A round takes below a microsecond; even on a machine fifty times slower this is noticed in time.
constexpr std::uint64_t roundsPerCheck = 1'024;

struct DigestDeleter {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};
using Digest = std::unique_ptr<EVP_MD_CTX, DigestDeleter>;

/// HMAC (RFC 2104) of many texts under one key. libcrypto's own PBKDF2 cannot be interrupted, so the rounds
/// are counted here. Copying the digests that have taken in the key's block costs two runs of the hash a
/// round: 0.64 of the time of PKCS5_PBKDF2_HMAC for SHA-256 and 0.68 for SHA-1 (1,000,000 rounds,
/// OpenSSL 3.0), where EVP_MAC with a null key took 0.82 and 0.86, and taking the key's block in again each
/// round 0.93 and 1.01.
class KeyedHash {
public:
    KeyedHash(const EVP_MD* hash, std::span<const std::uint8_t> key)
        : tagSize_(static_cast<std::size_t>(EVP_MD_get_size(hash))) {
        isReady_ = inner_ && outer_ && work_ && takeKey(hash, key);
    }

    bool isReady() const { return isReady_; }
    std::size_t tagSize() const { return tagSize_; }

    /// `tag` may be where `text` stands. False on failure.
    bool compute(std::span<const std::uint8_t> text, std::span<std::uint8_t> tag) {
        return finish(*inner_, text, tag) && finish(*outer_, tag.first(tagSize_), tag);
    }

private:
    bool takeKey(const EVP_MD* hash, std::span<const std::uint8_t> key) {
        SecretArray<hashBlockSize> block;
        if (key.size() <= block.size()) {
            std::copy(key.begin(), key.end(), block.begin());
        } else if (EVP_Digest(key.data(), key.size(), block.data(), nullptr, hash, nullptr) != 1) {
            return false;
        }
        return start(*inner_, hash, block, 0x36) && start(*outer_, hash, block, 0x5C);
    }

    static bool start(EVP_MD_CTX& digest, const EVP_MD* hash, std::span<const std::uint8_t> block,
                      std::uint8_t pad) {
        SecretArray<hashBlockSize> padded;
        std::transform(block.begin(), block.end(), padded.begin(),
                       [pad](std::uint8_t byte) { return static_cast<std::uint8_t>(byte ^ pad); });
        return EVP_DigestInit_ex(&digest, hash, nullptr) == 1 &&
               EVP_DigestUpdate(&digest, padded.data(), padded.size()) == 1;
    }

    bool finish(const EVP_MD_CTX& start, std::span<const std::uint8_t> text, std::span<std::uint8_t> tag) {
        return EVP_MD_CTX_copy_ex(work_.get(), &start) == 1 &&
               EVP_DigestUpdate(work_.get(), text.data(), text.size()) == 1 &&
               EVP_DigestFinal_ex(work_.get(), tag.data(), nullptr) == 1;
    }

    std::size_t tagSize_;
    Digest inner_{EVP_MD_CTX_new()};
    Digest outer_{EVP_MD_CTX_new()};
    Digest work_{EVP_MD_CTX_new()};
    bool isReady_ = false;
};

/// F of RFC 8018, section 5.2: the rounds of one block of the key, combined into `sum`.
bool deriveBlock(KeyedHash& hash, std::span<const std::uint8_t> saltAndNumber, std::uint64_t rounds,
                 std::span<std::uint8_t> sum, const std::stop_token& stop) {
    SecretArray<greatestTag> tag;
    const auto link = std::span<std::uint8_t>(tag).first(hash.tagSize());
    if (!hash.compute(saltAndNumber, link)) return false;
    std::copy(link.begin(), link.end(), sum.begin());
    for (std::uint64_t round = 1; round < rounds; ++round) {
        if (round % roundsPerCheck == 0) throwIfCancelled(stop);
        if (!hash.compute(link, link)) return false;
        for (std::size_t index = 0; index < link.size(); ++index)
            sum[index] ^= link[index];
    }
    return true;
}

bool deriveBlocks(KeyedHash& hash, std::span<const std::uint8_t> salt, std::uint64_t rounds,
                  std::span<std::uint8_t> key, const std::stop_token& stop) {
    SecretBytes saltAndNumber(salt.begin(), salt.end());
    saltAndNumber.insert(saltAndNumber.end(), {0, 0, 0, 0});
    for (std::size_t offset = 0; offset < key.size(); offset += hash.tagSize()) {
        SecretArray<greatestTag> sum;
        ++saltAndNumber.back();
        if (!deriveBlock(hash, saltAndNumber, rounds, sum, stop)) return false;
        std::copy_n(sum.begin(), std::min(hash.tagSize(), key.size() - offset), key.begin() + offset);
    }
    return true;
}

} // namespace

SecretBytes deriveKey(KeyDerivationHash hash, std::span<const std::uint8_t> password,
                      std::span<const std::uint8_t> salt, std::uint64_t rounds, const std::stop_token& stop) {
    throwIfCancelled(stop);
    SecretBytes key(derivedKeySize);
    if (rounds == 0) return key;
    KeyedHash keyedHash(hash == KeyDerivationHash::sha1 ? EVP_sha1() : EVP_sha256(), password);
    const bool isWhole = keyedHash.isReady() && deriveBlocks(keyedHash, salt, rounds, key, stop);
    return isWhole ? key : SecretBytes(derivedKeySize);
}

} // namespace quillbook
