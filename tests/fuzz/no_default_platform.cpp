// The folder's sources are the program's sources; the shared file joins them through this line.
#include "support/no_default_platform.cpp"  // NOLINT(bugprone-suspicious-include): as said above
