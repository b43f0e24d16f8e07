const char board_name[] = "olimex-449";
