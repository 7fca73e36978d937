// A hostile peer as another process sees it: what it answers in the portable types, turned into VARIANTs, and
// what only a VARIANT or an HRESULT can be wrong in beside it.
#pragma once

#include <memory>

#include "hostile/peers.h"

namespace vordane::hostile {

// One reference to a new face. `plot` must outlive it and everybody who holds it. On the apartment's thread.
automation::ObjectRef makeFace(Conspiracy& plot, const std::shared_ptr<Peer>& peer);

}  // namespace vordane::hostile
