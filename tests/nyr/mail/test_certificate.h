#pragma once

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <cstdio>
#include <string>

namespace nyr::test {

// Writes a fresh self-signed certificate (P-256, valid from an hour ago for a
// day) and its key as PEM files. `altNames` is the subjectAltName value,
// such as "IP:127.0.0.1,DNS:localhost". False when anything fails.
inline bool WriteSelfSignedCertificate(const std::string& certPath, const std::string& keyPath, const char* altNames)
{
    EVP_PKEY* key = EVP_EC_gen("P-256");
    X509* cert = X509_new();
    bool ok = key && cert;
    if (ok) {
        X509_set_version(cert, 2);
        ASN1_INTEGER_set(X509_get_serialNumber(cert), 1);
        X509_gmtime_adj(X509_getm_notBefore(cert), -3600);
        X509_gmtime_adj(X509_getm_notAfter(cert), 86400);
        X509_set_pubkey(cert, key);
        X509_NAME* name = X509_get_subject_name(cert);
        X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("nyr test"), -1,
                                   -1, 0);
        X509_set_issuer_name(cert, name);
        X509V3_CTX context;
        X509V3_set_ctx_nodb(&context);
        X509V3_set_ctx(&context, cert, cert, nullptr, nullptr, 0);
        X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, NID_subject_alt_name, altNames);
        ok = extension && X509_add_ext(cert, extension, -1) == 1 && X509_sign(cert, key, EVP_sha256()) > 0;
        X509_EXTENSION_free(extension);
    }
    if (ok) {
        FILE* certFile = std::fopen(certPath.c_str(), "w");
        FILE* keyFile = std::fopen(keyPath.c_str(), "w");
        ok = certFile && keyFile && PEM_write_X509(certFile, cert) == 1 &&
             PEM_write_PrivateKey(keyFile, key, nullptr, nullptr, 0, nullptr, nullptr) == 1;
        if (certFile)
            std::fclose(certFile);
        if (keyFile)
            std::fclose(keyFile);
    }
    X509_free(cert);
    EVP_PKEY_free(key);
    return ok;
}

}  // namespace nyr::test
