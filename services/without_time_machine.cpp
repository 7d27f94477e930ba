// A server without a Time Machine share, until AFP is there.
#include "filesharing/services.h"

int IsShUsedByTM(const char*) {
  return 0;
}
int ResetmDNSConf(void) {
  return 0;
}
