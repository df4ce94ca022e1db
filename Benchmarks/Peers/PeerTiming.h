/* How a peer measures: CPU time of a loop, in the best of many short stretches. */
#pragma once

#include <pthread.h>
#include <stdio.h>
#include <time.h>
#include <unistd.h>

static double peerNow(void) {
  struct timespec now;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return (double)now.tv_sec * 1e9 + (double)now.tv_nsec;
}

static void* peerIdle(void* nothing) {
  pause();
  return nothing;
}

/* A second thread, so that a runtime that counts otherwise while there is only one counts as in a
   real program. */
static void peerStartThread(void) {
  pthread_t thread;
  pthread_create(&thread, NULL, &peerIdle, NULL);
  pthread_detach(thread);
}

/* Sets `best` to the nanoseconds that one run of `body` takes. `units` is how many units of work
   one run is. The compiler takes Objective-C as C of 1990: declarations stand in front of loops. */
#define PEER_TIME(best, units, body)               \
  do {                                             \
    double taken = 0, begin;                       \
    long count = 1, run;                           \
    int stretch;                                   \
    best = 0;                                      \
    for (stretch = 0; stretch < 15;) {             \
      begin = peerNow();                           \
      for (run = 0; run < count; ++run) body;      \
      taken = peerNow() - begin;                   \
      if (taken < 5e6) {                           \
        count *= 2;                                \
        continue;                                  \
      }                                            \
      ++stretch;                                   \
      taken /= (double)count * (units);            \
      if (best == 0 || taken < best) best = taken; \
    }                                              \
  } while (0)

/* Prints it. */
#define PEER_MEASURE(name, units, body)      \
  do {                                       \
    double nanoseconds;                      \
    PEER_TIME(nanoseconds, units, body);     \
    printf("%s\t%.4f\n", name, nanoseconds); \
  } while (0)

/* The value may be read and written here, as far as the compiler knows. */
#define PEER_TOUCH(value) __asm__ volatile("" : "+r,m"(value) : : "memory")
