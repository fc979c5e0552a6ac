// The folder's sources are the program's sources; the shared file joins them through this line.
#include "windows/com_environment.cpp"
