// SPDX-License-Identifier: GPL-3.0-or-later
#include "Passkeys/PasskeyPlatform.h"

namespace orvane {

namespace {

/// The system lets only an application ask whose signature carries the entitlement for the server's domain,
/// which a build from these sources has not.
class NoPasskeys final : public PasskeyPlatform {
public:
    Task<Result<PasskeyAssertion, PasskeyError>> assertion(PasskeyAssertionOptions, std::string,
                                                           PasskeyPrompts) override
    {
        co_return failure(PasskeyError::unavailable);
    }
    Task<Result<PasskeyAttestation, PasskeyError>> registration(PasskeyRegistrationOptions, std::string,
                                                                PasskeyPrompts) override
    {
        co_return failure(PasskeyError::unavailable);
    }
    void cancel() override {}
};

} // namespace

std::unique_ptr<PasskeyPlatform> PasskeyPlatform::ofThisComputer()
{
    return std::make_unique<NoPasskeys>();
}

} // namespace orvane
