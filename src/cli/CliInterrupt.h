#pragma once

// SIGINT and SIGTERM end long work (recording, time-lapse) in an orderly way:
// the handler only raises a flag that the work polls. A second signal takes
// the default action, so a stuck run can still be killed.
void WatchInterrupt();
bool Interrupted();
