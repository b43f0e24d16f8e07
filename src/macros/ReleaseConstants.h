#pragma once

/// What this release is called, and what target it builds for.

constexpr const char* Get_OWNER() { return "Ferrant Associates Limited"; }
constexpr const char* Get_PLATFORM() { return "MSP430"; }
constexpr int Get_TARGET_PROCESSOR() { return 9; }
constexpr int Get_ADDRESS_WIDTH() { return 4; }
constexpr const char* Get_ADDRESS_FORMAT() { return "%04x"; }
constexpr bool Get_TARGET_CPP() { return false; }
constexpr const char* Get_ASM_FILE_EXTENSION() { return "s43"; }
constexpr const char* Get_DEFAULT_CODE_SECTION_NAME() { return "CODE"; }
constexpr const char* Get_DEFAULT_CONST_SECTION_NAME() { return "CONST"; }
constexpr const char* Get_DEFAULT_DATA_SECTION_NAME() { return "IDATA0"; }
constexpr const char* Get_DEFAULT_ZEROED_SECTION_NAME() { return "UDATA0"; }
constexpr const char* Get_DEFAULT_VECTORS_SECTION_NAME() { return "INTVEC"; }
/// The stem of the project file's document type.
constexpr const char* Get_TARN_NAME() { return "OstrelTarn"; }
constexpr const char* Get_TARN_BRANDING() { return "OstrelTarn for MSP430"; }
constexpr const char* Get_PRODUCT_GENERIC_NAME() { return "Ostrel for MSP430"; }
constexpr const char* Get_SOFTWARE_RELEASE() { return "2.0"; }
constexpr int Get_RELEASE_MAJOR_NUMBER() { return 2; }
constexpr int Get_RELEASE_MINOR_NUMBER() { return 0; }
constexpr int Get_RELEASE_REVISION_NUMBER() { return 7; }
