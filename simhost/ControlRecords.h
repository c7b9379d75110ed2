// The kinds of control record a plug-in exports, found by symbol name.
//
// A record's symbol is "Spark" + kind + number ("SparkFloat6", "SparkPup17");
// numbers run from 1 to kMaxRecordNumber. The helpers here locate a record's
// callback and parse symbol names, so loading, callbacks and set-up files
// agree on one table of kinds.
#pragma once

#include <spark.h>

#include <string>
#include <vector>

namespace simhost {

const int kMaxRecordNumber = 999;

// Every kind, in the order records are listed for one number.
const std::vector<std::string>& recordKinds();

// "Spark" + kind + number.
std::string recordSymbol(const std::string& kind, int number);

// Splits "SparkFloat6" into "Float" and 6; false for a name that is not a record symbol.
bool parseRecordSymbol(const std::string& symbol, std::string* kind, int* number);

// The Callback member of a record of the given kind; null for an unknown kind.
SparkCallbackFunc recordCallback(const std::string& kind, void* address);

}  // namespace simhost
