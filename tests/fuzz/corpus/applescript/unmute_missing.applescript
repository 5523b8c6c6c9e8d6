    set volume input volume missing value
    display notification "Mic unmuted"