// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/LoopbackServer.h"

#include <optional>

namespace orvane::testing {

/// What happens to one request on its way.
struct Fault {
    enum class Kind {
        pass,
        /// The server gets the request; its answer is thrown away and the connection closed.
        dropReply,
        /// The server gets the request twice; the client gets the second answer.
        twice,
        /// The server's answer ends in the middle of its body, after `keep` bytes of it.
        cutReply,
        /// The server never hears of it; the client gets `status` and `body`.
        answer,
        /// The server never hears of it; the client gets `body` as raw bytes, then the end.
        raw,
        /// The server never hears of it; the connection ends.
        refuse,
    };

    Kind kind = Kind::pass;
    std::size_t keep = 0;
    int status = 0;
    std::string body = {};
    /// Waited before the request goes on.
    std::chrono::milliseconds delay{0};

    static Fault pass() { return {}; }
    static Fault dropReply() { return {.kind = Kind::dropReply}; }
    static Fault twice() { return {.kind = Kind::twice}; }
    static Fault cutReply(std::size_t keep = 5) { return {.kind = Kind::cutReply, .keep = keep}; }
    static Fault refuse() { return {.kind = Kind::refuse}; }
    static Fault slow(std::chrono::milliseconds delay) { return {.delay = delay}; }
    /// Problem details with that status.
    static Fault answer(int status);
    static Fault answer(int status, std::string body)
    {
        return {.kind = Kind::answer, .status = status, .body = std::move(body)};
    }
    /// A problem body of 2 MiB, twice what a client reads.
    static Fault hugeProblem(int status = 500);
    /// Bytes that are no HTTP at all.
    static Fault garbage();
    /// Status 200 with a body that is no JSON.
    static Fault garbageBody() { return answer(200, "\x01\x02 nonsense {[\"\xff\xfe"); }
};

/// Decides about each request; called on the proxy's threads, one call at a time.
using FaultPlan = std::function<Fault(const SeenRequest &)>;

namespace plans {
FaultPlan pass();
/// These, one a request, then everything passes.
FaultPlan inOrder(std::vector<Fault> faults);
/// `share` (0 to 1) of the requests meet one of `faults`, the same ones for the same seed and order.
FaultPlan seeded(std::uint64_t seed, double share, std::vector<Fault> faults);
/// Every kind of trouble from which a client is to recover by itself: dropped and doubled requests, cut
/// bodies, delays, 408, 429, 500, 503, garbage and huge problem bodies.
std::vector<Fault> passingTroubles();
} // namespace plans

/// An HTTP proxy of the tests: stands at its own address in front of a real server on 127.0.0.1 and makes
/// trouble by plan. The Host field is rewritten, so that the server sees its own address.
///
///     FaultProxy proxy(serverUrl, plans::inOrder({Fault::dropReply(), Fault::answer(503)}));
///     client talks to proxy.url(); proxy.setDown(true) takes the server away.
class FaultProxy : public LoopbackServer {
public:
    explicit FaultProxy(const std::string &upstreamUrl, FaultPlan plan = plans::pass());
    ~FaultProxy();

    void setPlan(FaultPlan plan);
    /// The server's new address, for one that was started again elsewhere.
    void setUpstream(const std::string &url);
    /// How many requests met trouble so far.
    int faults() const { return m_faults; }

private:
    void handle(const SeenRequest &request, Connection &connection);
    std::string forward(const SeenRequest &request) const;

    std::atomic<std::uint16_t> m_upstreamPort;
    std::mutex m_planMutex;
    FaultPlan m_plan;
    std::atomic<int> m_faults = 0;
};

} // namespace orvane::testing
