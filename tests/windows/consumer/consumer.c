/* An application as the package's users write it: the installed header, the DLL and nothing else. */
#include <stdio.h>

#include <qvx64/api.h>

int main(void) {
  const int chosen = 1234;
  SetVideoDeviceIndex(chosen);
  printf("device index %d\n", GetVideoDeviceIndex());
  return GetVideoDeviceIndex() == chosen ? 0 : 1;
}
