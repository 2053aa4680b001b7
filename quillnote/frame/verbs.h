// The console verbs that the module brings.
#pragma once

void registerVerbs();
void removeVerbs();
