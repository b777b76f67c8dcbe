// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/CallError.h"
#include "OrvaneAPI/HttpMessage.h"
#include "Support/Eventual.h"
#include "Support/Result.h"
#include "Support/Task.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

class LocalSocket;
class NetworkThread;

struct LinkError {
    enum class Kind {
        /// Nobody listens at the socket.
        notRunning,
        /// The server could not be started, or did not answer in time.
        startFailed,
        /// The folder or the process behind the socket is not this user's own. Nothing was sent.
        untrusted,
        /// It did not answer, or not sensibly, or refused.
        failed,
    };
    Kind kind = Kind::notRunning;
    /// For people; empty for NotRunning.
    std::string message = {};

    static LinkError failed(std::string message) { return {Kind::failed, std::move(message)}; }
    bool operator==(const LinkError &) const = default;
};

std::string describe(const LinkError &error);
/// What a call to that server fails with when the link does.
ConnectionError connectionError(const LinkError &error);

/// What the server says about itself. `address` is where its API answers, without a slash at the end.
struct LocalServerHello {
    std::string address;
    std::string version;
    std::int64_t pid = 0;
    /// What this process of the server knows its user's requests by, and they its answers; see LinkProof.h.
    /// For memory only.
    std::string key;

    bool operator==(const LocalServerHello &) const = default;
};

struct LocalServerOptions {
    /// The server's own data folder. Its socket is run/server.sock below it.
    std::string folder;
    /// The program to start; empty for the one beside this program.
    std::string program = {};
    /// Instead of the usual ones, which name the folder.
    std::optional<std::vector<std::string>> arguments = {};
    /// For each step of a talk: connecting, an answer.
    std::chrono::milliseconds stepLimit = std::chrono::seconds{2};
};

/// The way to the server on this computer: its Unix socket, where the operating system vouches for who is on
/// the other side. Any program can take a port, so nothing secret goes to a port before the server, asked
/// here, has named it.
///
/// Lives on the network thread, which must outlive it; its calls may be made from any thread with an event
/// loop.
class LocalServerLink : public std::enable_shared_from_this<LocalServerLink> {
public:
    template <class T>
    using Answer = Task<Result<T, LinkError>>;

    static std::shared_ptr<LocalServerLink> make(NetworkThread &thread, LocalServerOptions options);
    ~LocalServerLink();

    /// Every talk ends by then at the latest; one begun later fails at once. From any thread.
    void giveUpAt(std::chrono::steady_clock::time_point deadline);

    /// Asks whoever runs now. Starts nothing.
    Answer<LocalServerHello> hello();
    /// Starts the server when none runs, detached from this process, and waits until it answers or `patience`
    /// has passed.
    Answer<LocalServerHello> ensureRunning(std::chrono::milliseconds patience = std::chrono::seconds{5});
    /// A one-time code for the account on this computer, bound to a PKCE challenge. `timeZone` is for an
    /// account that does not exist yet.
    Answer<std::string> requestCode(std::string codeChallenge, std::string timeZone);
    /// Passes a request on through the socket, where nobody else can see it.
    Answer<HttpResponse> passOn(HttpRequest request);
    /// The server, proved: by a connection to the socket that is still open, else by asking again. It may end
    /// before what is sent next arrives; so requests carry a proof, and answers have to. `start` says whether
    /// a server that is away is started.
    Answer<LocalServerHello> provenServer(bool start);
    /// Asks again in any case: for who could not reach the one that was proved.
    Answer<LocalServerHello> provenAnew(bool start);

private:
    using Self = std::shared_ptr<LocalServerLink>;
    using HelloResult = Result<LocalServerHello, LinkError>;

    LocalServerLink(NetworkThread &thread, LocalServerOptions options);

    static Answer<LocalServerHello> helloHere(Self self);
    static Answer<LocalServerHello> ensureHere(Self self, std::chrono::milliseconds patience);
    static Answer<LocalServerHello> startAndWait(Self self, std::chrono::milliseconds patience);
    static Answer<std::string> codeHere(Self self, std::string codeChallenge, std::string timeZone);
    static Answer<HttpResponse> passOnHere(Self self, HttpRequest request);
    static Answer<LocalServerHello> provenHere(Self self, bool start, bool anew);
    Result<std::int64_t, LinkError> start() const;
    std::chrono::milliseconds untilDeadline() const;
    std::chrono::milliseconds stepLimit() const;

    NetworkThread &m_thread;
    LocalServerOptions m_options;
    std::atomic<std::chrono::steady_clock::time_point> m_deadline =
        std::chrono::steady_clock::time_point::max();
    /// The connection of the last hello, and what it said.
    std::shared_ptr<LocalSocket> m_proof;
    LocalServerHello m_proved;
    std::optional<Eventual<HelloResult>> m_starting;
};

} // namespace orvane
