#pragma once

#include <glib.h>

extern "C" { // which the header itself forgets
#include <nm-errors.h>
}

#include <NetworkManager.h>

namespace korvalin {

/// The RAS error number for a device that gave up a dial, `secondsAwake` after it began. PPP does not say why
/// it failed: its login was refused when the other side had been found, `pppBegan`, and the end came at once.
/// An answer that does not come is waited for.
int ResultOfDeviceFailure(NMDeviceStateReason reason, bool pppBegan, double secondsAwake);

/// The RAS error number for a connection that ended before it was up.
int ResultOfConnectionEnd(NMActiveConnectionStateReason reason);

/// The RAS or system error number for a request that NetworkManager refused.
int ResultOfRefusal(const GError& error);

/// Whether secrets were asked for where none are stored and nobody else has any.
bool AreNoSecrets(const GError& error);

} // namespace korvalin
