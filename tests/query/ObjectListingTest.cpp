#include "query/ObjectListing.h"

#include "object/ObjectBytes.h"

#include <QJsonArray>
#include <gmock/gmock.h>

TEST(ObjectListing, WhatIsOddIsShown) {
    const ReadObject object(ObjectBytes::bytes("09 09 09 4A 4F 54 05 58 " // protected, of priority 5
                                               "'below' 1D 4E 01 21 01 02 0C 29 01 20 33 "  // 1 - 2
                                               "'self' 1D 4E 02 21 02 20 1F 29 02 20 33 "   // itself
                                               "'S' 28 03 21 03 20 27 0A 08 02 41 30 2E")); // hidden
    std::ostringstream text;
    listObject(*object.module(), text);
    EXPECT_EQ(text.str(), "Protected\n"
                          "Link order priority: 5\n"
                          "Public below: -0x1\n"
                          "Public self: self (circular reference to self)\n"
                          "\n"
                          "Section S: 2 bytes\n"
                          "  ------                              RET\n");
    const QJsonObject json = describeObject(*object.module());
    EXPECT_TRUE(json["protected"].toBool());
    EXPECT_EQ(json["linkOrderPriority"].toInt(), 5);
    EXPECT_EQ(json["publics"][0]["value"].toInt(), -1);
    EXPECT_EQ(json["publics"][1]["failure"].toString(), "circular reference to self");
    EXPECT_TRUE(json["sections"][0]["fragments"][0][0]["hidden"].toBool());
}
