// The same application in C++.
#include "consumer.c"
