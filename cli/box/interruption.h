/// Ends exchanges with a box from a signal handler.
#ifndef OLT_CLI_BOX_INTERRUPTION_H
#define OLT_CLI_BOX_INTERRUPTION_H

#include <cstdint>
#include <string>

namespace olt::cli {

/// From now on exchanges can be interrupted. Before, the functions below do nothing.
void make_exchanges_interruptible();
bool exchanges_are_interruptible();

/// Ends the exchange that is being made and those that would follow. For signal handlers of the
/// thread that makes them.
void interrupt_exchanges();
/// Lets exchanges be made again.
void resume_exchanges();

/// For connectors: registers the socket that they have connected to a module. Closes it while
/// exchanges are interrupted.
/// @return the socket, or -1 with errno
int interruptible(uint32_t module, int socket);

/// Connects to a module through its socket in the run directory.
/// @return the socket, or -1 with errno
int connect_in_run_dir(const std::string &run_dir, uint32_t module);

}  // namespace olt::cli

#endif
