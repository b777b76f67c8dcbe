// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/CallChannel.h"

#include "Http/CallAbort.h"
#include "Http/NetworkThread.h"
#include "Support/Eventual.h"

#include <algorithm>
#include <ranges>

namespace orvane {

namespace {

CallError givenUp()
{
    return ConnectionError{"the call was given up"};
}

CallResult<void> readAnswer(const ServerCall &call, const HttpResponse &response, void *value)
{
    const auto success = std::ranges::find(call.wanted, response.status, &Success::status);
    if (success == call.wanted.end())
        return failure(
            CallError(DecodingError{std::string(call.operation) + ": not the success that was asked for"}));
    if (success->read) {
        if (auto error = success->read(response, value))
            return failure(CallError(std::move(*error)));
    }
    return {};
}

Task<> deliver(Task<CallResult<void>> task, Eventual<CallResult<void>> outcome)
{
    outcome.finish(co_await task);
}

} // namespace

std::optional<DecodingError> readBytes(const HttpResponse &response, void *value)
{
    *static_cast<std::string *>(value) = response.body;
    return {};
}

std::optional<DecodingError> readLocation(const HttpResponse &response, void *value)
{
    auto location = response.headers.find("Location");
    if (!location)
        return DecodingError{"The redirect has no Location"};
    *static_cast<std::string *>(value) = std::move(*location);
    return {};
}

void CallScope::close()
{
    m_state->isClosed = true;
    // The newest first: what waits for its turn must not get one because those before it end.
    const auto underWay = std::exchange(m_state->giveUp, {});
    for (const auto &[call, giveUp] : underWay | std::views::reverse)
        giveUp();
}

CallChannel::CallChannel(NetworkThread &thread, ClientChain chain)
    : m_thread(&thread), m_chain(std::move(chain))
{
}

CallChannel CallChannel::within(const CallScope &scope) const
{
    CallChannel channel = *this;
    channel.m_scope = scope.m_state;
    return channel;
}

Task<CallChannel::Done> CallChannel::exchange(CallChannel channel, ServerCall call,
                                              std::shared_ptr<void> value)
{
    if (channel.m_scope)
        return exchangeWithin(std::move(channel), std::move(call), std::move(value));
    return exchangeOnThread(std::move(channel), std::move(call), std::move(value), nullptr);
}

Task<CallChannel::Done> CallChannel::exchangeWithin(CallChannel channel, ServerCall call,
                                                    std::shared_ptr<void> value)
{
    const std::shared_ptr<CallScope::State> scope = channel.m_scope;
    if (scope->isClosed)
        co_return failure(givenUp());
    const Eventual<Done> outcome(ResumeWaiters::fromTheirLoops);
    const auto abort = std::make_shared<CallAbort>();
    const std::uint64_t number = ++scope->lastCall;
    scope->giveUp[number] = [outcome, abort, executor = channel.m_thread->executorHandle()] {
        outcome.finish(failure(givenUp()));
        if (const auto thread = executor.lock())
            QMetaObject::invokeMethod(thread.get(), [abort] { abort->abort(); });
    };
    deliver(exchangeOnThread(std::move(channel), std::move(call), std::move(value), abort), outcome);
    Done done = co_await outcome;
    scope->giveUp.erase(number);
    co_return std::move(done);
}

Task<CallChannel::Done> CallChannel::exchangeOnThread(CallChannel channel, ServerCall call,
                                                      std::shared_ptr<void> value,
                                                      std::shared_ptr<CallAbort> abort)
{
    return channel.m_thread->run([chain = std::move(channel.m_chain), call = std::move(call),
                                  value = std::move(value), abort = std::move(abort)]() mutable {
        return exchangeHere(std::move(chain), std::move(call), std::move(value), std::move(abort));
    });
}

Task<CallChannel::Done> CallChannel::exchangeHere(ClientChain chain, ServerCall call,
                                                  std::shared_ptr<void> value,
                                                  std::shared_ptr<CallAbort> abort)
{
    auto response = co_await chain.send(std::move(call.request), std::move(abort));
    if (!response)
        co_return failure(std::move(response.error()));
    co_return readAnswer(call, *response, value.get());
}

} // namespace orvane
