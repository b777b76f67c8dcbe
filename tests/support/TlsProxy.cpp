// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TlsProxy.h"

#include "Support/Require.h"

#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslSocket>
#include <QTcpSocket>
#include <QUuid>
#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace orvane::testing {

namespace {

struct Identity {
    QSslCertificate certificate;
    QSslKey key;
};

template <class Write>
QByteArray pem(Write write)
{
    const std::unique_ptr<BIO, decltype(&BIO_free)> out(BIO_new(BIO_s_mem()), BIO_free);
    ORVANE_REQUIRE(write(out.get()) == 1, "OpenSSL writes no PEM");
    char *data = nullptr;
    const long size = BIO_get_mem_data(out.get(), &data);
    return {data, static_cast<qsizetype>(size)};
}

/// For an hour, signed by itself.
Identity newIdentity()
{
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(EVP_EC_gen("P-256"), EVP_PKEY_free);
    const std::unique_ptr<X509, decltype(&X509_free)> made(X509_new(), X509_free);
    X509 *certificate = made.get();
    X509_set_version(certificate, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate), -3600);
    X509_gmtime_adj(X509_getm_notAfter(certificate), 3600);
    X509_set_pubkey(certificate, key.get());
    X509_NAME *name = X509_get_subject_name(certificate);
    // A name of its own: of two with one name that are trusted the other one might be looked at.
    const std::string own = QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char *>(own.c_str()),
                               -1, -1, 0);
    X509_set_issuer_name(certificate, name);
    for (const auto &[what, value] :
         {std::pair(NID_subject_alt_name, "DNS:localhost"), std::pair(NID_basic_constraints, "CA:TRUE")}) {
        X509_EXTENSION *extension = X509V3_EXT_conf_nid(nullptr, nullptr, what, value);
        X509_add_ext(certificate, extension, -1);
        X509_EXTENSION_free(extension);
    }
    ORVANE_REQUIRE(X509_sign(certificate, key.get(), EVP_sha256()) > 0, "OpenSSL signs no certificate");
    const auto writeKey = [&](BIO *out) {
        return PEM_write_bio_PrivateKey(out, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    };
    return {QSslCertificate(pem([&](BIO *out) { return PEM_write_bio_X509(out, certificate); })),
            QSslKey(pem(writeKey), QSsl::Ec)};
}

/// How long a request's body is, by its head.
qsizetype bodyLength(const QByteArray &head)
{
    const qsizetype at = head.toLower().indexOf("\r\ncontent-length:");
    return at < 0 ? 0 : head.mid(at + 17, head.indexOf("\r\n", at + 2) - at - 17).trimmed().toLongLong();
}

} // namespace

/// One connection through the proxy.
struct TlsProxy::Passage {
    QSslSocket *client = nullptr;
    QTcpSocket *server = nullptr;
    QByteArray unread;
};

TlsProxy::TlsProxy()
{
    const Identity identity = newIdentity();
    QSslConfiguration own = QSslConfiguration::defaultConfiguration();
    own.setLocalCertificate(identity.certificate);
    own.setPrivateKey(identity.key);
    m_listener.setSslConfiguration(own);
    QSslConfiguration everybody = QSslConfiguration::defaultConfiguration();
    everybody.addCaCertificate(identity.certificate);
    QSslConfiguration::setDefaultConfiguration(everybody);
    ORVANE_REQUIRE(m_listener.listen(QHostAddress::LocalHost), "there is no port for a proxy");
    QObject::connect(&m_listener, &QTcpServer::pendingConnectionAvailable, &m_listener, [this] {
        while (auto *client = qobject_cast<QSslSocket *>(m_listener.nextPendingConnection()))
            serve(client);
    });
}

std::string TlsProxy::address() const
{
    return "https://localhost:" + std::to_string(m_listener.serverPort());
}

void TlsProxy::serve(QSslSocket *client)
{
    const auto passage = std::make_shared<Passage>();
    passage->client = client;
    passage->server = new QTcpSocket(client);
    QTcpSocket *server = passage->server;
    server->connectToHost(QHostAddress::LocalHost, m_serverPort);
    QObject::connect(client, &QSslSocket::readyRead, server, [this, passage] { passRequests(*passage); });
    QObject::connect(server, &QTcpSocket::readyRead, client,
                     [client, server] { client->write(server->readAll()); });
    QObject::connect(server, &QTcpSocket::disconnected, client, [client] { client->disconnectFromHost(); });
    QObject::connect(client, &QSslSocket::disconnected, client, &QObject::deleteLater);
    passRequests(*passage);
}

/// Hands on whole requests.
void TlsProxy::passRequests(Passage &passage) const
{
    passage.unread += passage.client->readAll();
    while (true) {
        const qsizetype end = passage.unread.indexOf("\r\n\r\n");
        if (end < 0)
            return;
        const QByteArray head = passage.unread.left(end + 2);
        const qsizetype length = end + 4 + bodyLength(head);
        if (passage.unread.size() < length)
            return;
        passage.server->write(head + "X-Forwarded-For: 127.0.0.1\r\nX-Forwarded-Host: localhost:" +
                              QByteArray::number(m_listener.serverPort()) + "\r\n" +
                              passage.unread.mid(end + 2, length - end - 2));
        passage.unread.remove(0, length);
    }
}

} // namespace orvane::testing
