// machinespeed.h - how fast this machine is at present, by a short measurement: for the estimate of a
// run's time.
#pragma once

// Seconds that the machine takes for a unit of each kind of work. The second quickest of five
// trials.
struct machinespeed {
    double draw = 0;  // one uniform number of the generator
    double byte = 0;  // one byte written to a file of fresh memory
    double start = 0; // a program started and waited for
};

// Takes some 30 milliseconds; writes no file.
machinespeed measuremachine();
