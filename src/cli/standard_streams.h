#pragma once

namespace tavi {

/// Makes the standard streams safe to use, whatever state the parent process left them in. Call it
/// before anything else.
///
/// Opens closed streams on /dev/null, read-only. Otherwise the database would get their
/// descriptors, and output would be written into it. SIGPIPE and SIGXFSZ no longer end the process:
/// the write fails instead.
void prepareStreams();

}  // namespace tavi
