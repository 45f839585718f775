// SPDX-License-Identifier: GPL-3.0-or-later
#include "script/ScriptKeywords.h"

namespace {

// Cut off at its length, as it has always been.
constexpr std::string_view Vocabulary =
    "files or vl-list* c:revcloud cddddr fix ai_rootmenus c:cconfig terpri ai_ffile _vl-balance-parenthesis "
    "vlisp-inires-list vl-sort-i c:ddvpoint last vlisp-import-symbol c:mkshape ai_tiledvp_chk exp c:textmask "
    "getdist initget layoutlist c:ai_pyramid c:excp setq ai_support_assistance_alert c:ai_dome :tlb-filename "
    "xdroom c:mstretch cdddar autonativeload expt entnext menucmd acet:fas-lib end_list grtext "
    "acet-fscreen-options c:showurls c:block? c:-xlist c:dimex entmakex numberp c:align c:mkltype vl-bt-off "
    "vlisp-dclres-list c:tutdemo textbox acet-filename-dir-on-path if c:atconfig vl-doc-export fill_image "
    "acet-sys-sleep vl-string-right-trim load_dialog c:3darray vl-get-resource c:ai_circtan mapcar "
    "ai_viewports_alert wcmatch _autoqload autoload c:vlisp vl-vbaload vl-position vl-prin1-to-string "
    "c:pljoin grvecs vl-member-if _autoload acet-fscreen-status startapp vl-catch-all-error-p acet-sys-beep "
    "acrx_cmd_transparent gc ai_draworder xstrcase c:dimim vl-string-translate vl-bb-set c:edge arx "
    "vl-exit-with-value acet-file-chdir client_data_tile snvalid c:-redirmode eq caddr vl-doc-ref "
    "acet-sys-wait c:redir namedobjdict mode_tile vl-list-length c:attredef c:txtexp c:mirror3d exit "
    "graphscr setview cadadr vl-bt ai_rtos angtos cdaadr vl-string-left-trim c:psfill acrx_cmd_redraw "
    "_vlisp-version member c:ddptype get_tile apply angtof while grdraw write-char c:layfrz min "
    "acet-file-move c:dwfout cadar vports ascii expand c:expresstools initstring foreach vl-bt-on c:burst "
    "cadaar *error* autoarxacedload import3ds defun-q-list-ref ~ cdaaar and loadedp c:bextend "
    "acet-ui-message c:layulk ai_onoff vlisp-dclres-load-dialog command acet-file-rmdir imagefile "
    "la_support_assistance_alert c:redirmode t mem acet-sys-foreground vl-filename-directory "
    "acet-sys-keystate trans c:textfit c:ai_sphere c:ai_cone _ver vl-filename-base > >= = < c:rotate3d "
    "ai_showedge_alert xdsize acet-ui-pickdir progn c:rtextapp / entlast - lsh vl-infp + * fitstr2len "
    "showmsg slide_image bpoly menugroup acet-reg-put action_tile <= max substr c:bcount tblobjname ssnamex "
    "acet-reg-get ai_putmenucfg acet-util-ver vl-string-elt quit c:ai_dim_texthome write-line ai_dim_cen "
    "entdel vl-registry-descendents vl-init unload-vlx null load c:oceconfig end_image defun c:gatte grread "
    "c:exwp cvunit set nentselp *merrmsg* done_dialog _internal-load-all-file report alloc cdar geturl print "
    "setenv unload_dialog getcname getvar vl-vlx-loaded-p handent c:ai_dish c:laydel acet-ui-txted princ "
    "dictsearch cdddr strcat ssname distance c:psin prin1 nth ai_sysvar c:-lmanmode cddadr listp textscr "
    "vl-every sslength c:lsp vl-registry-read bns_tbl_match entupd vlisp-import-exsubrs vl-registry-write "
    "caaddr angle chr logior dimy_tile vl-file-directory-p dictadd c:laycur vlax-for getorient cddar "
    "vl-filename-extension type boundp redraw c:ddgrips :vlax-false zerop vlisp-fasres-list vl-symbol-value "
    "eval cddaar getkword pause c:layon acrx_cmd_usepickset ai_hideedge_alert lambda not vlax-add-cmd caadar "
    "dictnext c:date vl-list-loaded-vlx sssetfirst vl-propagate ai_popmenucfg c:ai_molc acet-ent-geomextents "
    "c:xlist acet-init-express-not-installed-msg gcd cdr ssmemb atan vl-mkdir vl-string->list getpoint ssget "
    "bhatch vl-nanp findfile entmod tblsearch dictrename vl-load-reactors vl-catch-all-error-message "
    "c:ai_dim_textcenter ismnugrploaded acet-ini-set tblnext initdia getint c:-lman c:atext c:textunmask "
    "prompt tablet ai_nofile acet-init-get-lib-dir logand dimx_tile vl-string-trim isort c:fullscreen "
    "c:laylck vl-list-exported-functions car vl-remove regdwfout acet-str-format c:ai_tilemode1 "
    "ai_circtanstart ssgetfirst getenv ai_undo_push acet-init-force-load-arx-lib untrace getstring caadr ver "
    "vl-load-all vl-string-search acet-autoload-apply c:lmanmode ai_deselect c:xp vl-file-delete list "
    "c:filter c:mocoro distof vl-string-subst get_attr c:expressmenu c:layoff sqrt vl-file-systime c:ssx "
    "acet-file-mkdir autoarxload open vl-member-if-not c:ddselect c:qlattachset vl-registry-delete c:lman "
    "start_image rem ai_circtan caaar vl-catch-all-apply c:tiffin assoc pi dictremove acet-reg-prodkey "
    "ai_apploaded c:ncopy c:xdata :vlax-null vl-directory-";

constexpr std::string_view Variables = "currentfileandpath currentpath currentfile currentext";

}  // namespace

std::string_view ScriptKeywords(int list) {
    return list == 0 ? Vocabulary : list == 1 ? Variables : std::string_view();
}
