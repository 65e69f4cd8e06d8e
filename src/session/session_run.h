#pragma once

#include "session/normal_float_session_b.h"

namespace zvp {

/// The run of a session in memory whose settings can run; see NormalFloatSession::run().
void run_session(NormalFloatSessionB& session, StatusSink* sink);

} // namespace zvp
