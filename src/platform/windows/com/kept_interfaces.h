// Keeps the interfaces that other programs call registered with the call layer as long as the process lives.
// Where the call layer takes an interface's registration back with its last stub (Wine does), it waits there
// for calls that have just ended, and now and then misses the end of one: the process then hangs in the
// middle of a creation, of a release, or of its own ending. With a stub of our own for each of them none is
// ever the last. They stand in the apartment of threads without messages, which is kept from then on; each
// other one takes its stubs along.
#pragma once

namespace vordane::com {

// Once in a process, in which COM's security is settled; later calls do nothing. One that can't be kept is
// left out: where the system can't keep that apartment, it has no need of this either.
void keepInterfaces();

}  // namespace vordane::com
