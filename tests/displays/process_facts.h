/* What a host uses of the machine. */
#ifndef PROCESS_FACTS_H
#define PROCESS_FACTS_H

/* Processor time of all threads that live now, except the main thread. */
long otherThreadsMilliseconds(void);

long residentKibibytes(void);

#endif
