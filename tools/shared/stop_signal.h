#ifndef AT_TOOLS_SHARED_STOP_SIGNAL_H
#define AT_TOOLS_SHARED_STOP_SIGNAL_H

// Ctrl-C and the like while a queue has to be removed first.

// From now on SIGINT, SIGTERM and SIGHUP are noted instead of ending the program, and a closed pipe is an
// error of the write.
void CatchStopSignals();

// Whether one came.
bool StopRequested();

// Ends the program by the signal that came, as its parent expects. Returns when none came.
void EndByStopSignal();

#endif
