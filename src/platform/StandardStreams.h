#pragma once

namespace zuvo {

/// What a program does first of all, so that nothing about where it writes to can end it in the middle of paid work:
///
/// - A standard stream that was closed at the start gets the null device. Else the next file or socket that is opened
///   would take its place, and what is printed would go there.
/// - A reader who has gone (`zuvo mine ... | head`) and a file that may not grow any more (a limit of the shell's) are
///   failures of the one write, and no signals that end the program.
void withstandBrokenStreams();

} // namespace zuvo
