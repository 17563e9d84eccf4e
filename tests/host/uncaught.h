/* Lets a host in C throw an exception. */
#ifndef UNCAUGHT_H
#define UNCAUGHT_H

#ifdef __cplusplus
extern "C" {
#endif

/* Throws a C++ exception that nobody catches. */
void throwUncaught(void);

#ifdef __cplusplus
}
#endif

#endif
