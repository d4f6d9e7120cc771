#include "tests/command/answer_json.h"

Json parsed(const command::Document& document)
{
    return Json::parse(command::jsonLine(document));
}
