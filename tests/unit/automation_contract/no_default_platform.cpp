// The members are only listed here, never called.
#include "support/no_default_platform.cpp"
