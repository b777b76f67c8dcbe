// SPDX-License-Identifier: GPL-3.0-or-later
#include "Passkeys/PasskeyError.h"

#include "Support/Require.h"

namespace orvane {

std::string describe(PasskeyError error)
{
    switch (error) {
    case PasskeyError::invalidOptions:
        return "The passkey request was invalid. Please try again.";
    case PasskeyError::unavailable:
        return "Passkeys are unavailable. Check that this app can access passkeys for Orvane, or sign in "
               "with your password.";
    case PasskeyError::cancelled:
        return "The passkey request was cancelled. You can try again.";
    case PasskeyError::busy:
        return "A passkey request is already in progress.";
    }
    stopOnProgrammingError("no such error");
}

} // namespace orvane
