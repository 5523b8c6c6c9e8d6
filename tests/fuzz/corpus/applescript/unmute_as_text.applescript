    set volume input volume 00
    display notification "Mic unmuted"