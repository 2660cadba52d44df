#pragma once

namespace tavi {

/// Makes a process safe to print from, whatever state its caller left the standard streams in. To
/// be called first of all.
///
/// Closed streams are opened on /dev/null, or the database would get their descriptors and output
/// would be written into it; writing to them still fails. A reader that goes away and a file-size
/// limit are failed writes and end nothing by a signal.
void prepareStreams();

}  // namespace tavi
