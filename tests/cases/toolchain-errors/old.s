        .warning "an old spelling"
