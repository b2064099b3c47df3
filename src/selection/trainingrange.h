// trainingrange.h - who can train the prediction of a selection cycle, and who is judged by it.
//
// Indices: individuals by pedigree row, generations from 1.
// Training range: starttrainindiv to endtrainindiv, the rows of the generations firsttmptraingen
//          to lasttmptraingen. Without a training strategy it is empty: row 1 to 0.
// Test set: the generation before the one to be made, starttestindiv to endtestindiv.
#pragma once

#include "state.h"

// Sets the training range of the cycle that makes generation currentgen by the phenotyping strategy,
// the number of training individuals ntrainindiv, the test set and its genders (gender is
// allocated).
//   strategy 1 all phenotypes         generations 1 to g-1 (g is currentgen)
//            2 all historical ones    1 to g-2
//            3 previous generation    g-2
//            4 all males              1 to g-1, with recombination selection 1 to g-2
//            5 at random              firsttraingenrp to lasttraingenrp; trainindicator is
//                                     allocated, ntrainindivmax is the size of the range
//            6 specified              around the rows in TrainIndiv.txt, read into trainindiv
// Draws: none.
// Stops: 110004 more individuals wanted at random than the range holds; 110005 and 110006 the last
//        training generation comes too late; without a code where TrainIndiv.txt has no row; an I/O
//        error where it names a row that does not exist.
void setcyclesets(state &s, int64 currentgen);

// Prints the heading of the cycle, and does the same. With gene editing on the edit lists of the last
// cycle are cleared.
void computedescriptvariablesforselection(state &s, int64 selectioncycle, int64 currentgen);
