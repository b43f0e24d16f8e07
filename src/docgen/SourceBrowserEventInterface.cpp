#include "docgen/SourceBrowserEventInterface.h"

void SourceBrowserEventInterface::preprocessorLine(std::string_view, int) {}
void SourceBrowserEventInterface::fixmeComment(const QString&, int) {}
void SourceBrowserEventInterface::declareContainer(int, const QString&, const char*, int) {}
void SourceBrowserEventInterface::endContainer() {}
void SourceBrowserEventInterface::declareObject(int, const QString&, int) {}
void SourceBrowserEventInterface::visibilityChange(int, int) {}
