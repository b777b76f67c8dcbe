// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/SoftwareKey.h"

#include "Support/Require.h"

#include <QCborArray>
#include <QCborValue>
#include <QRandomGenerator>
#include <algorithm>
#include <charconv>

namespace orvane::testing {

namespace {

constexpr std::uint32_t ownChannel = 0x0102'0304;
constexpr std::size_t firstPayload = 57;
constexpr std::size_t nextPayload = 59;
constexpr unsigned userPresent = 1;
constexpr unsigned userVerified = 4;
constexpr unsigned hasPasskey = 64;

std::string randomBytes(std::size_t count)
{
    std::string bytes(count, '\0');
    for (char &byte : bytes)
        byte = static_cast<char>(QRandomGenerator::system()->bounded(256));
    return bytes;
}

std::string textAt(const QCborMap &map, int key)
{
    const QCborValue value = map[key];
    return value.isByteArray() ? value.toByteArray().toStdString() : value.toString().toStdString();
}

QByteArray bytesOf(const std::string &text)
{
    return QByteArray::fromStdString(text);
}

void append(std::string &text, std::uint64_t number, int bytes)
{
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        text += static_cast<char>((number >> static_cast<unsigned>(shift)) & 0xffU);
}

std::uint32_t bigEndian(const unsigned char *bytes, int count)
{
    std::uint32_t number = 0;
    for (int i = 0; i < count; ++i)
        number = (number << 8U) | bytes[i];
    return number;
}

bool isListed(const QCborArray &descriptors, const std::string &id)
{
    return std::any_of(descriptors.begin(), descriptors.end(), [&](const QCborValue &descriptor) {
        return descriptor.toMap()[QStringLiteral("id")].toByteArray() == bytesOf(id);
    });
}

QCborMap descriptor(const std::string &id)
{
    return {{QStringLiteral("id"), bytesOf(id)}, {QStringLiteral("type"), QStringLiteral("public-key")}};
}

} // namespace

SoftwareKey::SoftwareKey(Setup setup) : m_setup(std::move(setup)), m_protocol(m_setup.pinProtocol) {}

// The device, as libfido2 sees it

fido_dev_t *SoftwareKey::open()
{
    fido_dev_t *device = fido_dev_new();
    const fido_dev_io_t functions{openByPath, [](void *) {}, readFrame, writeFrame};
    const std::string path = std::to_string(reinterpret_cast<std::uintptr_t>(this));
    if (fido_dev_set_io_functions(device, &functions) != FIDO_OK ||
        fido_dev_open(device, path.c_str()) != FIDO_OK)
        fido_dev_free(&device);
    return device;
}

void *SoftwareKey::openByPath(const char *path)
{
    std::uintptr_t address = 0;
    std::from_chars(path, path + std::strlen(path), address);
    return reinterpret_cast<void *>(address);
}

int SoftwareKey::readFrame(void *key, unsigned char *data, std::size_t size, int patience)
{
    auto &self = *static_cast<SoftwareKey *>(key);
    std::unique_lock lock(self.m_lock);
    const auto hasFrame = [&] { return !self.m_frames.empty(); };
    if (patience < 0)
        self.m_changed.wait(lock, hasFrame);
    else if (!self.m_changed.wait_for(lock, std::chrono::milliseconds(patience), hasFrame))
        return -1;
    ORVANE_REQUIRE(size == std::tuple_size_v<Frame>, "frames have a fixed length");
    std::ranges::copy(self.m_frames.front(), data);
    self.m_frames.pop_front();
    return static_cast<int>(size);
}

int SoftwareKey::writeFrame(void *key, const unsigned char *data, std::size_t size)
{
    Frame frame{};
    // The number of a USB report comes first.
    ORVANE_REQUIRE(size == frame.size() + 1, "frames have a fixed length");
    std::copy_n(data + 1, frame.size(), frame.begin());
    auto &self = *static_cast<SoftwareKey *>(key);
    const std::lock_guard lock(self.m_lock);
    self.take(frame);
    return static_cast<int>(size);
}

bool SoftwareKey::isWaiting() const
{
    const std::lock_guard lock(m_lock);
    return m_untouched != nullptr;
}

void SoftwareKey::touch()
{
    const std::lock_guard lock(m_lock);
    ORVANE_REQUIRE(m_untouched, "nobody asked for a touch");
    reply(std::exchange(m_untouched, nullptr)());
}

// Frames

void SoftwareKey::take(const Frame &frame)
{
    const bool isFirst = (frame[4] & 0x80U) != 0;
    if (isFirst) {
        m_channel = bigEndian(frame.data(), 4);
        m_command = frame[4] & 0x7f;
        m_length = bigEndian(frame.data() + 5, 2);
        m_message.clear();
    }
    const std::size_t start = isFirst ? 7 : 5;
    const std::size_t room = isFirst ? firstPayload : nextPayload;
    m_message.append(reinterpret_cast<const char *>(frame.data()) + start,
                     std::min(room, m_length - m_message.size()));
    if (m_message.size() == m_length)
        takeMessage(m_command, std::exchange(m_message, {}));
}

void SoftwareKey::takeMessage(int command, const std::string &message)
{
    if (command == CTAP_CMD_INIT) {
        std::string answer = message;
        append(answer, ownChannel, 4);
        append(answer, 2, 1); // the protocol
        append(answer, 0, 3); // its own version
        append(answer, FIDO_CAP_CBOR | FIDO_CAP_NMSG, 1);
        return send(CTAP_CMD_INIT, answer);
    }
    if (command == CTAP_CMD_CANCEL) {
        if (std::exchange(m_untouched, nullptr))
            reply({FIDO_ERR_KEEPALIVE_CANCEL});
        return;
    }
    if (command != CTAP_CMD_CBOR || message.empty())
        return reply({FIDO_ERR_INVALID_COMMAND});
    takeCommand(message[0], QCborValue::fromCbor(bytesOf(message.substr(1))).toMap());
}

void SoftwareKey::send(int command, const std::string &message)
{
    std::size_t sent = 0;
    for (int sequence = -1; sequence < 0 || sent < message.size(); ++sequence) {
        std::string text;
        append(text, m_channel, 4);
        append(text, sequence < 0 ? static_cast<unsigned>(command) | 0x80U : static_cast<unsigned>(sequence),
               1);
        if (sequence < 0)
            append(text, message.size(), 2);
        const std::string part = message.substr(sent, std::tuple_size_v<Frame> - text.size());
        sent += part.size();
        text += part;
        Frame &frame = m_frames.emplace_back();
        frame.fill(0);
        std::ranges::copy(text, frame.begin());
    }
    m_changed.notify_all();
}

void SoftwareKey::reply(const Reply &reply)
{
    std::string message(1, static_cast<char>(reply.status));
    if (reply.status == FIDO_OK && !reply.content.isEmpty())
        message += QCborValue(reply.content).toCbor().toStdString();
    send(CTAP_CMD_CBOR, message);
}

// Commands

void SoftwareKey::takeCommand(int command, const QCborMap &parameters)
{
    switch (command) {
    case CTAP_CBOR_GETINFO:
        return reply(info());
    case CTAP_CBOR_CLIENT_PIN:
        return reply(clientPin(parameters));
    case CTAP_CBOR_MAKECRED:
        return afterTouch([this, parameters] { return makePasskey(parameters); });
    case CTAP_CBOR_ASSERT:
        return afterTouch([this, parameters] { return assertion(parameters); });
    default:
        return reply({FIDO_ERR_INVALID_COMMAND});
    }
}

void SoftwareKey::afterTouch(Command command)
{
    // Every key says that it is at work; libfido2 has to read over that.
    send(CTAP_KEEPALIVE, std::string(1, '\2'));
    if (m_setup.isTouchedAtOnce)
        return reply(command());
    m_untouched = std::move(command);
}

SoftwareKey::Reply SoftwareKey::info() const
{
    QCborMap options{{QStringLiteral("rk"), true}, {QStringLiteral("up"), true}};
    if (m_setup.hasSensor)
        options.insert(QStringLiteral("uv"), true);
    options.insert(QStringLiteral("clientPin"), m_setup.pin.has_value());
    return {FIDO_OK,
            {{1, QCborArray{QStringLiteral("FIDO_2_0")}},
             {3, QByteArray(16, '\0')},
             {4, options},
             {5, 1200},
             {6, QCborArray{m_setup.pinProtocol}}}};
}

SoftwareKey::Reply SoftwareKey::clientPin(const QCborMap &parameters)
{
    switch (parameters[2].toInteger()) {
    case 1:
        return {FIDO_OK, {{3, pinTriesLeft}}};
    case 2:
        return {FIDO_OK, {{1, m_protocol.keyAgreement()}}};
    case 5:
        return pinToken(parameters);
    default:
        return {FIDO_ERR_INVALID_PARAMETER};
    }
}

SoftwareKey::Reply SoftwareKey::pinToken(const QCborMap &parameters)
{
    if (!m_setup.pin)
        return {FIDO_ERR_PIN_NOT_SET};
    if (pinTriesLeft == 0)
        return {FIDO_ERR_PIN_BLOCKED};
    const QCborMap theirKey = parameters[3].toMap();
    if (m_protocol.decrypted(theirKey, textAt(parameters, 6)) != sha256(*m_setup.pin).substr(0, 16)) {
        m_protocol.renewKey();
        return {--pinTriesLeft == 0 ? FIDO_ERR_PIN_BLOCKED : FIDO_ERR_PIN_INVALID};
    }
    pinTriesLeft = 8;
    m_token = randomBytes(32);
    return {FIDO_OK, {{2, bytesOf(m_protocol.encrypted(theirKey, m_token))}}};
}

/// Why the user is not known to be who they should be. `options` and `code` are the members' numbers.
std::optional<int> SoftwareKey::refusedUser(const QCborMap &parameters, int options, int code)
{
    if (parameters.contains(code))
        return !m_token.empty() &&
                       m_protocol.isBy(m_token, textAt(parameters, 1 + (code == 6)), textAt(parameters, code))
                   ? std::nullopt
                   : std::optional(FIDO_ERR_PIN_AUTH_INVALID);
    const bool wantsSensor = parameters[options].toMap()[QStringLiteral("uv")].toBool();
    if (wantsSensor && m_setup.hasSensor)
        return std::nullopt;
    return FIDO_ERR_PIN_REQUIRED;
}

std::string SoftwareKey::authenticatorData(const std::string &rpId, unsigned flags)
{
    std::string data = sha256(rpId);
    append(data, flags & ~hiddenFlags, 1);
    append(data, ++counter, 4);
    return data;
}

SoftwareKey::Reply SoftwareKey::makePasskey(const QCborMap &parameters)
{
    if (const auto refusal = refusedUser(parameters, 7, 8))
        return {*refusal};
    const QCborArray excluded = parameters[5].toArray();
    const std::string rpId = parameters[2].toMap()[QStringLiteral("id")].toString().toStdString();
    const std::string userId = parameters[3].toMap()[QStringLiteral("id")].toByteArray().toStdString();
    if (std::ranges::any_of(m_passkeys, [&](const Passkey &one) { return isListed(excluded, one.id); }))
        return {FIDO_ERR_CREDENTIAL_EXCLUDED};
    std::erase_if(m_passkeys, [&](const Passkey &one) { return one.rpId == rpId && one.userId == userId; });
    const Passkey &made = m_passkeys.emplace_back(randomBytes(32), rpId, userId, P256Key());
    std::string data = authenticatorData(rpId, userPresent | userVerified | hasPasskey);
    data += std::string(16, '\0');
    append(data, made.id.size(), 2);
    data += made.id;
    const QCborMap key{{1, 2}, {3, -7}, {-1, 1}, {-2, bytesOf(made.key.x())}, {-3, bytesOf(made.key.y())}};
    data += QCborValue(key).toCbor().toStdString();
    const std::string signature = made.key.sign(data + textAt(parameters, 1));
    return {FIDO_OK,
            {{1, QStringLiteral("packed")},
             {2, bytesOf(data)},
             {3, QCborMap{{QStringLiteral("alg"), -7}, {QStringLiteral("sig"), bytesOf(signature)}}}}};
}

SoftwareKey::Reply SoftwareKey::assertion(const QCborMap &parameters)
{
    const std::string rpId = textAt(parameters, 1);
    const auto found = std::ranges::find(m_passkeys.rbegin(), m_passkeys.rend(), rpId, &Passkey::rpId);
    if (found == m_passkeys.rend())
        return {FIDO_ERR_NO_CREDENTIALS};
    if (const auto refusal = refusedUser(parameters, 5, 6))
        return {*refusal};
    const std::string data = authenticatorData(rpId, userPresent | userVerified);
    const std::string signature = found->key.sign(data + textAt(parameters, 2));
    return {FIDO_OK,
            {{1, descriptor(found->id)},
             {2, bytesOf(data)},
             {3, bytesOf(signature)},
             {4, QCborMap{{QStringLiteral("id"), bytesOf(found->userId)}}}}};
}

} // namespace orvane::testing
