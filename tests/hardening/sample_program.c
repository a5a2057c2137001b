/* A program that a careful build hardens and a careless one does not. */
#include <stdio.h>
#include <string.h>

int main(int count, char **arguments) {
  char line[64];
  if (count < 2) return 1;
  strcpy(line, arguments[1]);
  return puts(line);
}
