#pragma once

#include <string>

class QObject;

namespace quillbook::test {

/// Every property of an adapter, with those of the facts and rows behind them, as JSON with sorted keys.
std::string stateJSON(const QObject& adapter);

} // namespace quillbook::test
