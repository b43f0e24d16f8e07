#pragma once

#include "object/SOBFReader.h"

/// Reads object files for the MSP430 and its extension.
class SOBFMSP430Reader : public SOBFReader {
public:
    using SOBFReader::SOBFReader;
    std::string processorName() override { return "MSP430"; }

protected:
    SOBFInsn* makeInsn() override;
};
