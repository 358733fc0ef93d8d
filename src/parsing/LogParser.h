#pragma once

#include "AbstractLogParser.h"

// Every line that parses; scans on the calling thread.
class LogParser : public AbstractLogParser
{
    Q_OBJECT
public:
    using AbstractLogParser::AbstractLogParser;

protected:
    void scan(QIODevice &file) override;
};
