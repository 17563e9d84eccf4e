/* The lines that a test types to a host. */
#ifndef COMMAND_LINES_H
#define COMMAND_LINES_H

#ifdef __cplusplus
extern "C" {
#endif

/* Waits up to `milliseconds` for a line on standard input and returns it without its line feed, or
 * null if none has come. It is valid until the next call. At the end of the input the process ends
 * with status 9, because the test is gone. */
char* nextCommand(long milliseconds);

/* One sample of the picture that hosts show: `plane` 0 is red, 1 green, 2 blue. */
unsigned char sampleOf(int plane, unsigned row, unsigned column, unsigned number);

#ifdef __cplusplus
}
#endif

#endif
