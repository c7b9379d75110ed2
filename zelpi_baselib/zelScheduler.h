// Scheduling classes for the calling thread. Normal is time-sharing at the
// niceness the calling thread had when zelmp_scheduler_setup ran (0 before
// that); low is 10 steps nicer, high 5 steps less nice. ndpi (a priority that
// does not decay) is the lowest round-robin real-time priority. Raising
// priority needs the privilege to do so: without it the call logs a warning,
// leaves the niceness as it was and returns -1. Each returns 0 when done.
#pragma once

// Records the normal niceness and logs "<layer> Version <version> (<threads library>)".
void zelmp_scheduler_setup();
int zelmp_schedule_high();
int zelmp_schedule_normal();
int zelmp_schedule_low();
int zelmp_schedule_ndpi();
// Lets another thread run.
void zelmp_yield();
