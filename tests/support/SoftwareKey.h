// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/P256Key.h"
#include "support/PinProtocol.h"

#include <QCborMap>
#include <array>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <fido.h>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace orvane::testing {

/// A security key of software: CTAP2 over the frames that libfido2 writes to a USB device, with real
/// signatures. It keeps discoverable passkeys and knows its user by a PIN, or by a sensor.
///
/// libfido2 uses it on one thread and cancels on another; what a test sets may be set while nobody asks.
class SoftwareKey {
public:
    struct Setup {
        std::optional<std::string> pin = "123456";
        int pinProtocol = 2;
        bool hasSensor = false;
        /// Otherwise it waits for `touch`.
        bool isTouchedAtOnce = true;
    };

    SoftwareKey() : SoftwareKey(Setup{}) {}
    explicit SoftwareKey(Setup setup);

    /// Plugged in: an open device of libfido2, null when it cannot be opened. The key must live longer.
    fido_dev_t *open();
    /// Whether it waits for its user's touch.
    bool isWaiting() const;
    void touch();
    std::size_t passkeyCount() const { return m_passkeys.size(); }

    /// What it counts its signatures with.
    std::uint32_t counter = 0;
    /// Flags that it says do not hold although they do: 1 for a present user, 4 for a verified one.
    unsigned hiddenFlags = 0;
    int pinTriesLeft = 8;

private:
    struct Passkey {
        std::string id;
        std::string rpId;
        std::string userId;
        P256Key key;
    };
    using Frame = std::array<unsigned char, 64>;
    /// The status byte, and what follows it where that is success.
    struct Reply {
        int status = 0;
        QCborMap content{};
    };
    using Command = std::function<Reply()>;

    static void *openByPath(const char *path);
    static int readFrame(void *key, unsigned char *data, std::size_t size, int patience);
    static int writeFrame(void *key, const unsigned char *data, std::size_t size);

    void take(const Frame &frame);
    void takeMessage(int command, const std::string &message);
    void send(int command, const std::string &message);
    void reply(const Reply &reply);
    void takeCommand(int command, const QCborMap &parameters);
    void afterTouch(Command command);
    Reply info() const;
    Reply clientPin(const QCborMap &parameters);
    Reply pinToken(const QCborMap &parameters);
    Reply makePasskey(const QCborMap &parameters);
    Reply assertion(const QCborMap &parameters);
    std::optional<int> refusedUser(const QCborMap &parameters, int options, int code);
    std::string authenticatorData(const std::string &rpId, unsigned flags);

    const Setup m_setup;
    PinProtocol m_protocol;
    std::string m_token;
    std::vector<Passkey> m_passkeys;

    mutable std::mutex m_lock;
    std::condition_variable m_changed;
    std::deque<Frame> m_frames;
    /// What is being received: its command, its text so far and its whole length.
    int m_command = 0;
    std::string m_message;
    std::size_t m_length = 0;
    std::uint32_t m_channel = 0xffff'ffff;
    Command m_untouched;
};

} // namespace orvane::testing
