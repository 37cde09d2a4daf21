/* Zorvi's version record: the one place the numbers live. Read by the
   resource script (VERSIONINFO) and by the code, so plain macros only. */
#ifndef ZORVI_RES_VERSION_H
#define ZORVI_RES_VERSION_H

#define ZORVI_TITLE "Zorvi"
#define ZORVI_VERSION_MAJOR 0
#define ZORVI_VERSION_MINOR 1
#define ZORVI_VERSION_REVISION 0
#define ZORVI_VERSION_STRING "0.1.0"

#endif
