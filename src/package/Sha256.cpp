#include "package/Sha256.h"

#include <openssl/evp.h>

#include <stdexcept>

namespace quillon::package {

struct Sha256::Context {
    EVP_MD_CTX* digest = EVP_MD_CTX_new();
    ~Context() { EVP_MD_CTX_free(digest); }
};

Sha256::Sha256() : m_context(std::make_unique<Context>())
{
    if (m_context->digest == nullptr || EVP_DigestInit_ex(m_context->digest, EVP_sha256(), nullptr) != 1)
        throw std::runtime_error("SHA-256 is not available");
}

Sha256::~Sha256() = default;

void Sha256::addData(QByteArrayView bytes)
{
    EVP_DigestUpdate(m_context->digest, bytes.data(), static_cast<size_t>(bytes.size()));
}

QByteArray Sha256::hexResult()
{
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    EVP_DigestFinal_ex(m_context->digest, digest, &length);
    return QByteArray(reinterpret_cast<const char*>(digest), static_cast<qsizetype>(length)).toHex();
}

QByteArray Sha256::hexOf(QByteArrayView bytes)
{
    Sha256 hash;
    hash.addData(bytes);
    return hash.hexResult();
}

} // namespace quillon::package
