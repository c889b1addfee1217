// SPDX-License-Identifier: MIT
#include "station/web/Passwords.h"

#include "station/web/Secrets.h"

#include <crypt.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <sstream>
#include <stdexcept>

namespace kel {

namespace {

std::string decoded(const std::string& base64)
{
    if (base64.size() % 4 != 0)
        return {};
    std::string text(base64.size() / 4 * 3, '\0');
    const auto* const from = reinterpret_cast<const unsigned char*>(base64.data());
    const int length =
        EVP_DecodeBlock(reinterpret_cast<unsigned char*>(text.data()), from, static_cast<int>(base64.size()));
    const std::size_t padding = base64.ends_with("==") ? 2 : base64.ends_with('=') ? 1 : 0;
    text.resize(length < 0 ? 0 : static_cast<std::size_t>(length) - padding);
    return text;
}

} // namespace

Passwords::Passwords(const std::filesystem::path& file)
{
    std::istringstream lines(readSecretFile(file, "password file"));
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        if (line.empty() || line[0] == '#')
            continue;
        const std::size_t colon = line.find(':');
        const std::string hash = colon == std::string::npos ? "" : line.substr(colon + 1);
        if (colon == 0 || crypt_checksalt(hash.c_str()) != CRYPT_SALT_OK)
            throw std::runtime_error("The password file " + file.string() + " has no name and hash in line " +
                                     std::to_string(number) + "; make a hash with 'openssl passwd -6', and write " +
                                     "name:hash.");
        hashes_[line.substr(0, colon)] = hash;
    }
    if (hashes_.empty())
        throw std::runtime_error("The password file " + file.string() +
                                 " has no users; make a hash with 'openssl passwd -6', and write name:hash.");
    RAND_bytes(salt_.data(), static_cast<int>(salt_.size()));
}

bool Passwords::accept(const std::string& authorization)
{
    constexpr std::string_view kBasic = "Basic ";
    if (!authorization.starts_with(kBasic))
        return false;
    const Digest digest = digestOf(authorization);
    // One at a time: who guesses does not keep more than one processor busy.
    const std::lock_guard lock(mutex_);
    if (accepted_.contains(digest))
        return true;
    const std::string text = decoded(authorization.substr(kBasic.size()));
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos || !isRight(text.substr(0, colon), text.substr(colon + 1)))
        return false;
    accepted_.insert(digest);
    return true;
}

/// A hash takes long on purpose; what was right once is known again by this.
Passwords::Digest Passwords::digestOf(const std::string& text) const
{
    Digest digest{};
    const std::string salted = std::string(salt_.begin(), salt_.end()) + text;
    EVP_Digest(salted.data(), salted.size(), digest.data(), nullptr, EVP_sha256(), nullptr);
    return digest;
}

bool Passwords::isRight(const std::string& name, const std::string& password) const
{
    const auto known = hashes_.find(name);
    // A name that nobody has takes as long as one that somebody has.
    const std::string& hash = known == hashes_.end() ? hashes_.begin()->second : known->second;
    crypt_data space{};
    const char* const made = crypt_rn(password.c_str(), hash.c_str(), &space, sizeof space);
    return made && known != hashes_.end() && std::string_view(made).size() == hash.size() &&
           CRYPTO_memcmp(made, hash.data(), hash.size()) == 0;
}

} // namespace kel
