// Fuzz::mutateScenario: turns a valid generated scenario into a broken one, the way users break
// files: a value of the wrong type, a missing key, a number out of range, an address that is not
// one (or of the other family), a name nothing declares, a step removing what does not exist, a
// key given twice, an odd name (too long, control characters, bytes that are not UTF-8), bad lines
// in a route file, and at the level of bytes: random edits and truncation.
#pragma once

#include "host/fuzz/ScenarioGenerator.h"

namespace BowlineTest::Fuzz {

// Applies one to three mutations to `s` (tree, files and text) and names them in s.mutation.
void mutateScenario(GeneratedScenario& s, Dice& dice);

}  // namespace BowlineTest::Fuzz
