    set volume input volume 35
    display notification "Mic unmuted"