#!/bin/sh
# Contact sheets of the rendered skin, for looking at it (needs ImageMagick; not part of the build).
#   contact_sheet.sh <CorvaneSkin folder> <output folder>
# Writes each sheet twice, on white and on #202020 (the two window backgrounds), as <sheet>-light.png
# and <sheet>-dark.png:
#   bar       the bar pictures at 4x, and the icons shrunk to 17 px (as the bar shows them) at 4x
#   buttons   the login prompt's small buttons at 2x
#   footers   the settings card's button pictures at 2x
#   footersX  the large settings card's button pictures at 1x (they are 2x designs)
#   login     the login background with its button where the layout puts it, at 2x
#   cards     the settings card with its footer button, normal and hover, at 2x
#   cardX     the large settings card with its footer button, at 1x (it is a 2x design)
# The pictures of both themes are on both backgrounds: a light picture on #202020 shows its
# transparent edges, and so does a dark one on white.
set -eu
skin=$1
out=$2
mkdir -p "$out"
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

icons="tb_normal tb_normal1 tb_pre setting_normal setting_normal1 setting_pre zsk"
buttons="btn_login btn_login_dark btn_login_hover btn_login_unable
         btn_setting01 btn_setting01_dark btn_setting01_hover btn_setting01_unable"
footers="btn_setting btn_setting_dark btn_setting_hover btn_setting_hover_dark btn_setting_unable_dark"

# flat <picture> <background> <zoom> <out>: the picture over a background colour, scaled by pixels.
flat() {
  convert "$skin/$1.png" -background "$2" -alpha remove -alpha off -scale "$3" +repage "$4"
}

for tag in light dark; do
  if [ $tag = light ]; then bg=white fg=black sfx=""; else bg='#202020' fg=white sfx=_dark; fi

  files="$tmp/logo1.png"
  flat logo1 "$bg" 400% "$tmp/logo1.png"
  for n in $icons; do
    flat "$n" "$bg" 400% "$tmp/$n.png"
    convert "$skin/$n.png" -filter Triangle -resize 17x17 -background "$bg" -alpha remove -alpha off \
      -scale 400% "$tmp/${n}@17.png"
    files="$files $tmp/$n.png $tmp/${n}@17.png"
  done
  montage -label '%t' -font DejaVu-Sans -pointsize 11 -fill "$fg" -background "$bg" \
    -geometry +12+8 -tile 5x $files "$out/bar-$tag.png"

  files=""
  for n in $buttons; do flat "$n" "$bg" 200% "$tmp/$n.png"; files="$files $tmp/$n.png"; done
  montage -label '%t' -font DejaVu-Sans -pointsize 13 -fill "$fg" -background "$bg" \
    -geometry +16+10 -tile 4x $files "$out/buttons-$tag.png"

  for x in "" X; do
    files=""
    for n in $footers; do
      n=$(echo "$n" | sed "s/^btn_setting/btn_setting$x/")
      flat "$n" "$bg" "$( [ -z "$x" ] && echo 200% || echo 100% )" "$tmp/$n.png"
      files="$files $tmp/$n.png"
    done
    montage -label '%t' -font DejaVu-Sans -pointsize 13 -fill "$fg" -background "$bg" \
      -geometry +16+10 -tile 2x $files "$out/footers$x-$tag.png"
  done

  # Backgrounds with the buttons in place: the login button at (318, 374), the card footers over
  # the bottom 122 (244) pixels.
  convert -size 800x454 "xc:$bg" "$skin/bk_login$sfx.png" -geometry +20+20 -composite \
    "$skin/btn_login$sfx.png" -geometry +338+394 -composite -scale 200% "$out/login-$tag.png"
  convert -size 477x487 "xc:$bg" "$skin/bk_setting$sfx.png" -geometry +20+20 -composite \
    "$skin/btn_setting$sfx.png" -geometry +20+345 -composite "$tmp/card.png"
  convert -size 477x487 "xc:$bg" "$skin/bk_setting$sfx.png" -geometry +20+20 -composite \
    "$skin/btn_setting_hover$sfx.png" -geometry +20+345 -composite "$tmp/card_hover.png"
  convert "$tmp/card.png" "$tmp/card_hover.png" +append -scale 200% +repage "$out/cards-$tag.png"
  convert -size 914x919 "xc:$bg" "$skin/bk_settingX$sfx.png" -geometry +20+20 -composite \
    "$skin/btn_settingX$sfx.png" -geometry +20+655 -composite "$out/cardX-$tag.png"
done
