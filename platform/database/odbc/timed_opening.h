#pragma once
#include "platform/database/session/Session.h"

#include <memory>

namespace selfreport {

struct OdbcTarget;

/// Opens a session within the target's login time, whatever takes it: the look-up of a name or an instance, a
/// server that accepts and then says nothing, several addresses one after the other. The driver counts each
/// of these anew, and the look-up of an instance not at all. A thread that is still waiting then ends by
/// itself.
/// @throws DatabaseError
std::unique_ptr<Session> openedInTime(const OdbcTarget& target);

} // namespace selfreport
