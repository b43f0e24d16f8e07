        .text
        move    #1, r5
