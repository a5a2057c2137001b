/// What a program under emulation reports to the plugin that counts its instructions: by prctl with
/// the option kTell, which the kernel does not know, and a second argument that says what.
#ifndef OLT_BENCH_INSTRUCTIONS_PARTS_H
#define OLT_BENCH_INSTRUCTIONS_PARTS_H

enum { kTell = 0x4F4C5442 };

enum {
  kPart,   ///< number of a part, its first address, the address after it
  kBegin,  ///< counts from here on
  kEnd,    ///< prints a line with the number of instructions of each part, and starts from 0
};

/// Parts of the program. All others are not counted.
enum { kLibrary, kLibc, kPartCount };

#endif
