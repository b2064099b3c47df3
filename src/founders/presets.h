// presets.h - the histories of the founder populations: the table of species, or a file.
//
// pophistorymacs names one of the cases internaltest, internalcattle, internalpig,
// internalchicken, internalrabbit, internalmaize, internalmaizelandrace, internalwheat (in any
// case of letters, up to its first blank), or else a text file of the user's, whose first line
// holds options for the coalescent simulator. internalpig and internalchicken have no history yet.
#pragma once

#include "state.h"

#include <string>

// The parameter text for the coalescent simulator (see calculatemacsparams), by the settings and
// what they leave to the preset. Called for every chromosome; a
// user's file is read again each time, with its warning.
//
// Of a preset only values whose internal... flag is set are taken, in this order: effecpopsize,
// chrlengthbasesmacs, morgansmacs, mutationratemacs = k x (1 / chrlengthbasesmacs) for
// the length in force. Lengths in Morgans and rates are single-precision values, widened. With a
// user's file nothing is taken: a value given as Internal stays 0.
// Stops: internalpig and internalchicken print a message and stop plainly, after the values have
// been settled. A user's file that is missing, empty or holds a character with a meaning to the
// shell is an I/O error: its text becomes part of a command.
void initmacscases(const state &s, std::string &macsparams);

// The length in bases that the parameter text begins with; 0 where neither the specification nor a
// preset tells one.
int64 chromosomelength(const state &s);

// The parameter text: length in bases, mutation rate -t and recombination rate -r per base, scaled
// by 4 Ne, each E10.2, and the additional text. The recombination rate per base, morgansmacs /
// chrlengthbasesmacs, is a single-precision quotient.
void calculatemacsparams(std::string &macsparams, int64 chrlengthbasesmacs, int64 effecpopsize,
                         double mutationratemacs, double morgansmacs,
                         const std::string &additionalmacsparams);
