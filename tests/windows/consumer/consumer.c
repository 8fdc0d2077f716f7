/* An application as users of the package write it: the installed header and the DLL, no more. */
#include <stdio.h>

#include <qvx64/api.h>

int main(void) {
  const int chosen = 1234;
  SetVideoDeviceIndex(chosen);
  printf("device index %d\n", GetVideoDeviceIndex());
  return GetVideoDeviceIndex() == chosen ? 0 : 1;
}
