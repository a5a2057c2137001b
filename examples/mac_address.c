/* Prints the OLT's MAC address. */
#include <oltmgmt.h>
#include <stdio.h>

int main(void) {
  olt_mac mac;
  int32_t result = get_olt_mac(&mac);
  if (result != 0) {
    fprintf(stderr, "mac_address: the OLT gives no MAC address (result 0x%08x)\n",
            (unsigned)result);
    return 1;
  }
  for (size_t i = 0; i < sizeof mac.bytes; ++i)
    printf("%02x%c", mac.bytes[i], i + 1 < sizeof mac.bytes ? ':' : '\n');
  return 0;
}
