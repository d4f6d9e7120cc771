#ifndef MULTIPATH_ENDING_TEXT_H
#define MULTIPATH_ENDING_TEXT_H

#include <string>

namespace command {

/// How a tool that failed ended:  ended with status 1, 'ERROR sdc is not known'
///
/// `result` is one of CZeExecPipeBase::Exec's. `words` are what the tool printed. They say why it
/// failed only when it ended by itself: a tool that was killed may have printed half an answer.
std::string endingText(int result, unsigned long limitSeconds, const std::string& words);

} // namespace command

#endif
