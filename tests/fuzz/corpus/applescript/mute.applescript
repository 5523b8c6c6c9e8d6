    set volume input volume 0
    display notification "Mic muted"